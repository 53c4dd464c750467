#pragma once

#include <string>

#include "framework/page_error.h"
#include "platform/sysint.h"

/// Short texts for the radio bands and bandwidths in use, such as "B2, n41" and "20 MHz, 100 MHz".
class BandCombination {
  public:
    BandCombination() = default;
    BandCombination(const BandCombination&) = delete;
    BandCombination& operator=(const BandCombination&) = delete;

    // The order of the virtual operations is part of the interface of the class.

    /// Appends the bands to @p text, which the caller gives empty. Without a ready SIM or a
    /// cellular technology the text becomes "-"; when the device does not tell, it stays as it was.
    /// Always returns PAGE_ERROR_NONE.
    virtual PageError GetBandCombinationString(std::string& text);

    /// The same for the bandwidths, with their translated unit.
    virtual PageError GetBandwidthString(std::string& text);

    virtual ~BandCombination() = default;

  private:
    // The readers replace what they are given, and leave it alone when the device does not tell.

    void Get3GBandValue(std::string& band);
    void Get4GBandValue(std::string& band);
    void Get5GBandValue(std::string& band);
    void Get5GMode(sys_wan_5g_mode_e& mode);

    // The texts are appended; mode is a sys_wan_5g_mode_e.

    void GetThreeGBandString(std::string& text);
    void GetFourGBandString(std::string& text);
    void GetFiveGBandString(int mode, std::string& text);
    void GetBandwidth(std::string& text);
    void Get5GBandwidth(int mode, std::string& text);
};
