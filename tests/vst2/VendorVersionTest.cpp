#include <gtest/gtest.h>

#include "vst2/VendorVersion.h"

TEST(VendorVersion, BytesFromMostSignificantWithoutLeadingZeroBytes)
{
    EXPECT_EQ(Morvane::FormatVendorVersion(0), "");
    EXPECT_EQ(Morvane::FormatVendorVersion(256), "V1.0");
    EXPECT_EQ(Morvane::FormatVendorVersion(0x01020304), "V1.2.3.4");
    EXPECT_EQ(Morvane::FormatVendorVersion(0x10203), "V1.2.3");
    EXPECT_EQ(Morvane::FormatVendorVersion(1100), "V4.76");
    EXPECT_EQ(Morvane::FormatVendorVersion(7), "V7");
    // Inner and trailing zero bytes are kept.
    EXPECT_EQ(Morvane::FormatVendorVersion(0x01000000), "V1.0.0.0");
    EXPECT_EQ(Morvane::FormatVendorVersion(0x00010001), "V1.0.1");
    EXPECT_EQ(Morvane::FormatVendorVersion(-1), "V255.255.255.255");
}
