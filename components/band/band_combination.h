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

    // The order of the virtual operations is part of the binary interface of the class.

    /// Appends the bands to @p text, which the caller passes empty. Without a ready SIM or a
    /// cellular technology, @p text becomes "-"; if the device cannot be read, it stays as it was.
    /// Always returns PAGE_ERROR_NONE.
    virtual PageError GetBandCombinationString(std::string& text);

    /// The same for the bandwidths, with their translated unit.
    virtual PageError GetBandwidthString(std::string& text);

    virtual ~BandCombination() = default;

  private:
    // These read one value of the device. If that fails, the argument stays as it was.

    void Get3GBandValue(std::string& band);
    void Get4GBandValue(std::string& band);
    void Get5GBandValue(std::string& band);
    void Get5GMode(sys_wan_5g_mode_e& mode);

    // These append to text; mode is a sys_wan_5g_mode_e.

    void GetThreeGBandString(std::string& text);
    void GetFourGBandString(std::string& text);
    void GetFiveGBandString(int mode, std::string& text);
    void GetBandwidth(std::string& text);
    void Get5GBandwidth(int mode, std::string& text);
};
