// Basic AAX types, records, result codes and identifiers shared by the
// plug-in and the host.
#pragma once

#include <cstdint>

typedef int32_t AAX_Result;
typedef uint32_t AAX_CTypeID;
typedef const char* AAX_CParamID;
typedef int32_t AAX_CFieldIndex;
typedef float AAX_CSampleRate;
typedef uint8_t AAX_CBoolean;
typedef int32_t AAX_CPropertyValue;
typedef int32_t AAX_CProcPtrID;
typedef uint32_t AAX_CSelector;
typedef uint32_t AAX_CTimestamp;

// Four-character codes are big-endian 32-bit values: 'TvV2' == 0x54765632.
constexpr AAX_CTypeID AAX_FourCC(const char (&c)[5])
{
    return (static_cast<uint32_t>(static_cast<uint8_t>(c[0])) << 24) |
           (static_cast<uint32_t>(static_cast<uint8_t>(c[1])) << 16) |
           (static_cast<uint32_t>(static_cast<uint8_t>(c[2])) << 8) |
           static_cast<uint32_t>(static_cast<uint8_t>(c[3]));
}

enum AAX_EError : int32_t {
    AAX_SUCCESS = 0,
    AAX_ERROR_INVALID_PARAMETER_ID = -20001,
    AAX_ERROR_INVALID_STRING_CONVERSION = -20002,
    AAX_ERROR_INVALID_METER_INDEX = -20003,
    AAX_ERROR_NULL_OBJECT = -20004,
    AAX_ERROR_OLDER_VERSION = -20005,
    AAX_ERROR_INVALID_CHUNK_INDEX = -20006,
    AAX_ERROR_INVALID_CHUNK_ID = -20007,
    AAX_ERROR_INCORRECT_CHUNK_SIZE = -20008,
    AAX_ERROR_UNIMPLEMENTED = -20009,
    AAX_ERROR_INVALID_PARAMETER_INDEX = -20010,
    AAX_ERROR_NOT_INITIALIZED = -20011,
    AAX_ERROR_ACF_ERROR = -20012,
    AAX_ERROR_INVALID_METER_TYPE = -20013,
    AAX_ERROR_CONTEXT_ALREADY_HAS_METERS = -20014,
    AAX_ERROR_NULL_COMPONENT = -20015,
    AAX_ERROR_PORT_ID_OUT_OF_RANGE = -20016,
    AAX_ERROR_FIELD_TYPE_DOES_NOT_SUPPORT_DIRECT_ACCESS = -20017,
    AAX_ERROR_DIRECT_ACCESS_OUT_OF_BOUNDS = -20018,
    AAX_ERROR_FIFO_FULL = -20019,
    AAX_ERROR_INITIALIZING_PACKET_STREAM_THREAD = -20020,
    AAX_ERROR_POST_PACKET_FAILED = -20021,
    AAX_RESULT_PACKET_STREAM_NOT_EMPTY = -20022,
    AAX_RESULT_ADD_FIELD_UNSUPPORTED_FIELD_TYPE = -20023,
    AAX_ERROR_MIXER_THREAD_FALLING_BEHIND = -20024,
    AAX_ERROR_INVALID_FIELD_INDEX = -20025,
    AAX_ERROR_MALFORMED_CHUNK = -20026,
    AAX_ERROR_TOD_BEHIND = -20027,
    AAX_RESULT_NEW_PACKET_POSTED = -20028,
    AAX_ERROR_PLUGIN_NOT_AUTHORIZED = -20029,
    AAX_ERROR_PLUGIN_NULL_PARAMETER = -20030,
    AAX_ERROR_NOTIFICATION_FAILED = -20031,
    AAX_ERROR_INVALID_VIEW_SIZE = -20032,
    AAX_ERROR_SIGNED_INT_OVERFLOW = -20033,
    AAX_ERROR_NO_COMPONENTS = -20034,
    AAX_ERROR_DUPLICATE_EFFECT_ID = -20035,
    AAX_ERROR_DUPLICATE_TYPE_ID = -20036,
    AAX_ERROR_EMPTY_EFFECT_NAME = -20037,
    AAX_ERROR_UNKNOWN_PLUGIN = -20038,
    AAX_ERROR_PROPERTY_UNDEFINED = -20039,
    AAX_ERROR_INVALID_PATH = -20040,
    AAX_ERROR_UNKNOWN_ID = -20041,
    AAX_ERROR_UNKNOWN_EXCEPTION = -20042,
    AAX_ERROR_INVALID_ARGUMENT = -20043,
    AAX_ERROR_NULL_ARGUMENT = -20044,
    AAX_ERROR_INVALID_INTERNAL_DATA = -20045,
    AAX_ERROR_ARGUMENT_BUFFER_OVERFLOW = -20046,
    AAX_ERROR_UNSUPPORTED_ENCODING = -20047,
    AAX_ERROR_UNEXPECTED_EFFECT_ID = -20048,
    AAX_ERROR_NO_ABBREVIATED_PARAMETER_NAME = -20049,
    AAX_ERROR_ARGUMENT_OUT_OF_RANGE = -20050,
    AAX_ERROR_PRINT_FAILURE = -20051,
};

// What caused a parameter update.
enum AAX_EUpdateSource : int32_t {
    AAX_eUpdateSource_Unspecified = 0,
    AAX_eUpdateSource_Parameter = 1,
    AAX_eUpdateSource_Chunk = 2,
    AAX_eUpdateSource_Delay = 3,
};

enum AAX_EParameterType : int32_t {
    AAX_eParameterType_Discrete = 0,
    AAX_eParameterType_Continuous = 1,
};

typedef int32_t AAX_EParameterOrientation;
constexpr AAX_EParameterOrientation AAX_eParameterOrientation_Default = 0;

enum AAX_EMIDINodeType : int32_t {
    AAX_eMIDINodeType_LocalInput = 0,
    AAX_eMIDINodeType_LocalOutput = 1,
    AAX_eMIDINodeType_Global = 2,
    AAX_eMIDINodeType_Transport = 3,
};

enum AAX_EDataInPortType : int32_t {
    AAX_eDataInPortType_Unbuffered = 0,
    AAX_eDataInPortType_Buffered = 1,
    AAX_eDataInPortType_Incremental = 2,
};

enum AAX_EViewContainer_Type : int32_t {
    AAX_eViewContainer_Type_NULL = 0,
    AAX_eViewContainer_Type_NSView = 1,
    AAX_eViewContainer_Type_UIView = 2,
    AAX_eViewContainer_Type_HWND = 3,
    // Not a published AAX type: ours, for hosts on Linux. GetPtr() carries an
    // X11 Window ID (an integer, not an address), the parent of the editor.
    AAX_eViewContainer_Type_X11Window = 0x58313157,  // 'X11W'
};

// Stem formats: the channel count is the low 16 bits.
enum AAX_EStemFormat : int32_t {
    AAX_eStemFormat_Mono = 0x00000001,
    AAX_eStemFormat_Stereo = 0x00010002,
    AAX_eStemFormat_None = static_cast<int32_t>(0xFFFF0000u),
};
inline int32_t AAX_STEM_FORMAT_CHANNEL_COUNT(int32_t format) { return format & 0xFFFF; }

enum AAX_EPlugInCategory : uint32_t {
    AAX_ePlugInCategory_None = 0x00000000,
    AAX_ePlugInCategory_EQ = 0x00000001,
    AAX_ePlugInCategory_Dynamics = 0x00000002,
    AAX_ePlugInCategory_PitchShift = 0x00000004,
    AAX_ePlugInCategory_Reverb = 0x00000008,
    AAX_ePlugInCategory_Delay = 0x00000010,
    AAX_ePlugInCategory_Modulation = 0x00000020,
    AAX_ePlugInCategory_Harmonic = 0x00000040,
    AAX_ePlugInCategory_NoiseReduction = 0x00000080,
    AAX_ePlugInCategory_Dither = 0x00000100,
    AAX_ePlugInCategory_SoundField = 0x00000200,
    AAX_ePlugInCategory_HWGenerators = 0x00000400,
    AAX_ePlugInCategory_SWGenerators = 0x00000800,
    AAX_ePlugInCategory_WrappedPlugin = 0x00001000,
    AAX_EPlugInCategory_Effect = 0x00002000,
};

// Property identifiers used in property maps.
enum AAX_EProperty : int32_t {
    AAX_eProperty_NoID = 0,
    AAX_eProperty_ManufacturerID = 11,
    AAX_eProperty_ProductID = 12,
    AAX_eProperty_PlugInID_Native = 13,
    AAX_eProperty_PlugInID_AudioSuite = 14,
    AAX_eProperty_InputStemFormat = 51,
    AAX_eProperty_OutputStemFormat = 52,
    // Mask of the sample rates the algorithm supports.
    AAX_eProperty_SampleRate = 58,
    // Whether the host may bypass the effect itself.
    AAX_eProperty_CanBypass = 60,
    // Whether the algorithm needs the host to keep it on one thread.
    AAX_eProperty_UsesClientGUI = 151,
};

constexpr AAX_CPropertyValue AAX_eSampleRateMask_All = 0x7FFFFFFF;

// Procedure identifiers for AddProcPtr.
constexpr AAX_CProcPtrID kAAX_ProcPtrID_Create_EffectParameters = 0;
constexpr AAX_CProcPtrID kAAX_ProcPtrID_Create_EffectGUI = 1;
constexpr AAX_CProcPtrID kAAX_ProcPtrID_Create_HostProcessor = 3;

struct AAX_Point {
    AAX_Point() = default;
    AAX_Point(float v, float h) : vert(v), horz(h) {}
    float vert = 0.0f;
    float horz = 0.0f;
};

struct AAX_Rect {
    float top = 0.0f;
    float left = 0.0f;
    float width = 0.0f;
    float height = 0.0f;
};

// A plug-in chunk as the host stores it. fData is a variable-length tail:
// the host allocates sizeof(AAX_SPlugInChunkHeader) + fSize bytes.
struct AAX_SPlugInChunkHeader {
    int32_t fSize;
    int32_t fVersion;
    AAX_CTypeID fManufacturerID;
    AAX_CTypeID fProductID;
    AAX_CTypeID fPlugInID;
    AAX_CTypeID fChunkID;
    unsigned char fName[32];
};

struct AAX_SPlugInChunk {
    int32_t fSize;
    int32_t fVersion;
    AAX_CTypeID fManufacturerID;
    AAX_CTypeID fProductID;
    AAX_CTypeID fPlugInID;
    AAX_CTypeID fChunkID;
    unsigned char fName[32];
    char fData[1];
};
typedef AAX_SPlugInChunk* AAX_SPlugInChunkPtr;

// One MIDI message travelling through a MIDI node.
struct AAX_CMidiPacket {
    uint32_t mTimestamp = 0;   // sample offset within the buffer
    uint32_t mLength = 0;      // number of bytes used in mData
    unsigned char mData[4] = {0, 0, 0, 0};
    AAX_CBoolean mIsImmediate = 0;
};

struct AAX_CMidiStream {
    uint32_t mBufferSize = 0;  // number of packets
    AAX_CMidiPacket* mBuffer = nullptr;
};

// Notification codes the wrapper knows about.
constexpr AAX_CTypeID AAX_eNotificationEvent_ASPreviewState = 0x41535076;  // 'ASPv'

// Version reported by ACFGetSDKVersion: AAX SDK version in the upper 32 bits,
// SDK revision in the lower.
constexpr uint64_t kAAX_SDK_VERSION_WORD = 0x000002000061125CULL;
