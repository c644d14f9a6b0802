// Which product this bundle is: set per bundle at build time (see
// AAXWrapper_Identity.cpp), read by the rest of the front end.
#pragma once

#include <string>

#include "AAX.h"
#include "DefaultDir.h"  // kDefault_Dir, shared with the log configuration
#include "fakehost/HostMode.h"

extern const std::string PLUGIN_NAME;
extern const std::string EXTENSION_NAME;
extern const std::string BUNDLE_ID;
extern const std::string GIT_REVISION;
extern const std::string VERSION;
extern const std::string VST_PLUGIN_NAME;
extern const std::string VST_PLUGIN_EXTENSION;
extern const std::string kMidiInID;
extern const std::string kMidiOutID;
extern const std::string kMidiTransportID;
extern const std::string kManufacturerName;
// "CLASSIC" or "STANDARD": how this bundle hosts its plug-in.
extern const std::string HOST_MODE;
extern const EHostMode kHostMode;
// Points into BUNDLE_ID; the AAX effect ID.
extern const char* const kEffectID_Wrapper;

// Product code: AAX product ID, native plug-in ID and the wrapper's chunk ID.
extern const AAX_CTypeID kProductID;
extern const AAX_CTypeID kManufacturerID;
