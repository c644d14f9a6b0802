// Sends parameter values to the real-time side: each changed parameter marks
// its packets dirty, and Dispatch (on the host's GenerateCoefficients) fills
// and posts every dirty packet to its algorithm context field.
#pragma once

#include <cstdint>
#include <cstring>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "AAX.h"
#include "AAX_CMutex.h"

class AAX_IParameter;

class AAX_IController;
class AAX_IEffectParameters;

// The payload of one context field. Storage is inline so that filling a
// packet never allocates.
class AAX_CPacket {
public:
    static constexpr uint32_t kMaxPacketSize = 64;

    explicit AAX_CPacket(AAX_CFieldIndex inFieldIndex) : mID(inFieldIndex) {}

    // Sizes the payload for one T and gives access to it.
    template <typename T>
    T* GetPtr()
    {
        static_assert(sizeof(T) <= kMaxPacketSize, "packet payload too large");
        mSize = sizeof(T);
        return reinterpret_cast<T*>(mData);
    }
    const void* GetData() const { return mData; }
    uint32_t GetSize() const { return mSize; }
    AAX_CFieldIndex GetID() const { return mID; }
    void SetDirty(bool iDirty) { mDirty = iDirty; }
    bool IsDirty() const { return mDirty; }

private:
    AAX_CFieldIndex mID;
    bool mDirty = true;
    uint32_t mSize = 0;
    alignas(8) unsigned char mData[kMaxPacketSize] = {};
};

class AAX_IPacketHandler {
public:
    virtual ~AAX_IPacketHandler() = default;
    virtual AAX_IPacketHandler* Clone() const = 0;
    // Fills the packet for the given parameter; 0 means "post it".
    virtual AAX_Result CallHandler(AAX_CParamID iParameterID, AAX_CPacket& ioPacket) const = 0;
};

// A handler that is a const member function of some object.
template <class TWorker>
class AAX_CPacketHandler : public AAX_IPacketHandler {
public:
    typedef AAX_Result (TWorker::*Handler)(AAX_CParamID, AAX_CPacket&) const;

    AAX_CPacketHandler(const TWorker* iWorker, Handler iHandler) : mWorker(iWorker), mHandler(iHandler) {}
    AAX_CPacketHandler* Clone() const override { return new AAX_CPacketHandler(*this); }
    AAX_Result CallHandler(AAX_CParamID iParameterID, AAX_CPacket& ioPacket) const override
    {
        return (mWorker->*mHandler)(iParameterID, ioPacket);
    }

private:
    const TWorker* mWorker;
    Handler mHandler;
};

class AAX_CPacketDispatcher {
public:
    AAX_CPacketDispatcher() = default;
    AAX_CPacketDispatcher(const AAX_CPacketDispatcher&) = delete;
    AAX_CPacketDispatcher& operator=(const AAX_CPacketDispatcher&) = delete;
    ~AAX_CPacketDispatcher() = default;

    void Initialize(AAX_IController* iController, AAX_IEffectParameters* iEffectParameters);

    // Registers a packet for a parameter; it starts dirty so the first
    // dispatch sends it. The handler is cloned.
    AAX_Result RegisterPacket(AAX_CParamID paramID, AAX_CFieldIndex portID, const AAX_IPacketHandler* iHandler);
    // The common case: the packet carries the parameter's own value.
    AAX_Result RegisterPacket(AAX_CParamID paramID, AAX_CFieldIndex portID);
    template <class TWorker>
    AAX_Result RegisterPacket(AAX_CParamID paramID, AAX_CFieldIndex portID, const TWorker* iWorker,
                              typename AAX_CPacketHandler<TWorker>::Handler iHandler)
    {
        const AAX_CPacketHandler<TWorker> handler(iWorker, iHandler);
        return RegisterPacket(paramID, portID, &handler);
    }

    AAX_Result SetDirty(AAX_CParamID paramID, bool iDirty = true);
    // Sets the parameter's value and marks its packets dirty under the
    // dispatcher's lock, so that Dispatch on another host thread never reads
    // a value half-written.
    AAX_Result UpdateParameter(AAX_IParameter& parameter, AAX_CParamID paramID, double normalizedValue);
    AAX_Result Dispatch();
    // The standard single-value handler (float as 4 bytes, bool and int32 as
    // a 4-byte integer, double as 8 bytes).
    AAX_Result GenerateSingleValuePacket(AAX_CParamID iParam, AAX_CPacket& ioPacket) const;

    size_t NumRegisteredPackets() const { return mPacketsHandlers.size(); }
    void RemoveAllPackets();

private:
    struct PacketRecord {
        AAX_CPacket mPacket;
        std::unique_ptr<AAX_IPacketHandler> mHandler;
    };

    AAX_CMutex mLockGuard;
    AAX_IController* mController = nullptr;
    AAX_IEffectParameters* mEffectParameters = nullptr;
    // Transparent: a lookup by an identifier makes no string of it.
    std::multimap<std::string, PacketRecord, std::less<>> mPacketsHandlers;
};
