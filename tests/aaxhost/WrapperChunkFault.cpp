// A wrapper fault on purpose, linked only into one test bundle: the linker
// (--wrap) routes the front end's call of the AAX library's GetChunk here,
// and every save changes the last byte of the parameter chunk. The plug-in
// is blameless; the validator must say the state failure is the wrapper's.
#include "AAX.h"

extern "C" AAX_Result __real__ZNK21AAX_CEffectParameters8GetChunkEjP16AAX_SPlugInChunk(const void* self,
                                                                                       AAX_CTypeID id,
                                                                                       AAX_SPlugInChunk* chunk);

extern "C" AAX_Result __wrap__ZNK21AAX_CEffectParameters8GetChunkEjP16AAX_SPlugInChunk(const void* self,
                                                                                       AAX_CTypeID id,
                                                                                       AAX_SPlugInChunk* chunk)
{
    static unsigned char saves = 0;
    const AAX_Result result = __real__ZNK21AAX_CEffectParameters8GetChunkEjP16AAX_SPlugInChunk(self, id, chunk);
    if (result == AAX_SUCCESS && chunk != nullptr && chunk->fSize > 0)
        chunk->fData[chunk->fSize - 1] = static_cast<char>(chunk->fData[chunk->fSize - 1] ^ ++saves);
    return result;
}
