// ACF, the AAX Component Framework: a COM-style binary object model.
// Interfaces are abstract classes with virtual functions only, identified by
// 16-byte identifiers, and reference counted.
#pragma once

#include <cstdint>
#include <cstring>

typedef int32_t ACFRESULT;
typedef uint32_t acfUInt32;

struct acfUID {
    uint32_t Data1;
    uint16_t Data2;
    uint16_t Data3;
    uint8_t Data4[8];
};
typedef acfUID acfIID;
typedef acfUID acfCLSID;

inline bool operator==(const acfUID& a, const acfUID& b)
{
    return std::memcmp(&a, &b, sizeof(acfUID)) == 0;
}
inline bool operator!=(const acfUID& a, const acfUID& b) { return !(a == b); }

constexpr ACFRESULT ACF_OK = 0;
constexpr ACFRESULT ACF_FALSE = 1;
constexpr ACFRESULT ACF_E_NOINTERFACE = static_cast<ACFRESULT>(0x80000004u);
constexpr ACFRESULT ACF_E_POINTER = static_cast<ACFRESULT>(0x80004003u);
constexpr ACFRESULT ACF_E_UNEXPECTED = static_cast<ACFRESULT>(0x8000FFFFu);
constexpr ACFRESULT ACF_E_OUTOFMEMORY = static_cast<ACFRESULT>(0x8007000Eu);

// The base interface identifier of COM.
inline constexpr acfIID IID_IACFUnknown = {0x00000000, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};

class IACFUnknown {
public:
    virtual ACFRESULT QueryInterface(const acfIID& iid, void** ppOut) = 0;
    virtual acfUInt32 AddRef() = 0;
    virtual acfUInt32 Release() = 0;

protected:
    // Objects are destroyed through Release, never through this pointer.
    ~IACFUnknown() = default;
};

// What a plug-in hands back from ACFRegisterPlugin: the description it filled.
inline constexpr acfIID IID_IACFPluginDefinition = {0x4D72766E, 0x0001, 0x4143, {0x46, 0x50, 0x6C, 0x75, 0x67, 0x44, 0x65, 0x66}};

class IACFPluginDefinition : public IACFUnknown {
protected:
    ~IACFPluginDefinition() = default;
};

// Signatures of the seven exported entry points, for hosts that look them up.
extern "C" {
typedef ACFRESULT (*ACFRegisterPluginProc)(IACFUnknown* pUnkHost, IACFPluginDefinition** ppPluginDefinition);
typedef ACFRESULT (*ACFRegisterComponentProc)(IACFUnknown* pUnkHost, acfUInt32 index, IACFUnknown** ppComponentDefinition);
typedef ACFRESULT (*ACFGetClassFactoryProc)(IACFUnknown* pUnkHost, const acfCLSID& clsid, const acfIID& iid, void** ppOut);
typedef ACFRESULT (*ACFCanUnloadNowProc)(IACFUnknown* pUnkHost);
typedef ACFRESULT (*ACFStartupProc)(IACFUnknown* pUnkHost);
typedef ACFRESULT (*ACFShutdownProc)(IACFUnknown* pUnkHost);
typedef ACFRESULT (*ACFGetSDKVersionProc)(uint64_t* oSDKVersion);
}
