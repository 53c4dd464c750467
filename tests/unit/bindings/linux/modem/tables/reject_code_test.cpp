#include "bindings/linux/modem/tables/reject_code.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using binding::RejectCodeOf;

TEST(RejectCode, IsTheCauseBehindTheModemsError) {
    const struct {
        const char* name;
        int cause;
    } rows[] = {
        {"IllegalUe", 3},
        {"IllegalMe", 6},
        {"PsServicesNotAllowed", 7},
        {"PlmnNotAllowed", 11},
        {"RoamingNotAllowedInArea", 13},
        {"Congestion", 22},
        {"MissingOrUnknownApn", 27},
        {"UserAuthenticationFailed", 29},
        {"PdpAuthFailure", 29},
        {"ServiceOptionNotSubscribed", 33},
        {"RequestedApnNotSupported", 66},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(RejectCodeOf(std::string("org.freedesktop.ModemManager1.Error.MobileEquipment.") +
                               row.name),
                  row.cause)
            << row.name;
    }
}

TEST(RejectCode, OtherErrorsAreNoRejects) {
    for (const char* name :
         {"", "PlmnNotAllowed", "org.freedesktop.ModemManager1.Error.MobileEquipment.",
          "org.freedesktop.ModemManager1.Error.MobileEquipment.NoNetwork",
          "org.freedesktop.ModemManager1.Error.Core.PlmnNotAllowed",
          "org.freedesktop.ModemManager1.Error.MobileEquipment.PlmnNotAllowed2"}) {
        EXPECT_EQ(RejectCodeOf(name), std::nullopt) << name;
    }
}

}  // namespace
