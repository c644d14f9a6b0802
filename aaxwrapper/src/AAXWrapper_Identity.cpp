// The only front-end source compiled once per bundle: add_aax_wrapper()
// passes the product's identity as compile definitions. The definitions are
// in declaration order on purpose, since later ones copy earlier ones during
// static initialisation of this one translation unit.
#include "AAXWrapper_Identity.h"

#if !defined(AAXW_PLUGIN_NAME) || !defined(AAXW_EXTENSION_NAME) || !defined(AAXW_BUNDLE_ID) ||          \
    !defined(AAXW_GIT_REVISION) || !defined(AAXW_VERSION) || !defined(AAXW_MANUFACTURER_NAME) ||          \
    !defined(AAXW_PRODUCT_ID) || !defined(AAXW_MANUFACTURER_ID) || !defined(AAXW_HOST_MODE)
#error "AAXWrapper_Identity.cpp must be built through add_aax_wrapper()"
#endif

const std::string PLUGIN_NAME = AAXW_PLUGIN_NAME;
const std::string EXTENSION_NAME = AAXW_EXTENSION_NAME;
const std::string BUNDLE_ID = AAXW_BUNDLE_ID;
const std::string GIT_REVISION = AAXW_GIT_REVISION;
const std::string VERSION = AAXW_VERSION;
const std::string VST_PLUGIN_NAME = PLUGIN_NAME;
const std::string VST_PLUGIN_EXTENSION = EXTENSION_NAME;
const std::string kMidiInID = PLUGIN_NAME;
const std::string kMidiOutID = PLUGIN_NAME;
const std::string kMidiTransportID = PLUGIN_NAME;
const std::string kManufacturerName = AAXW_MANUFACTURER_NAME;
const char* const kEffectID_Wrapper = BUNDLE_ID.c_str();
const std::string HOST_MODE = AAXW_HOST_MODE;
const EHostMode kHostMode = HOST_MODE == "STANDARD" ? EHostMode::kStandard : EHostMode::kClassic;

const AAX_CTypeID kProductID = AAXW_PRODUCT_ID;
const AAX_CTypeID kManufacturerID = AAXW_MANUFACTURER_ID;
