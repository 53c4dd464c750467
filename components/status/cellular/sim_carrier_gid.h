#pragma once

#include <cstdint>

/// Reads group identifier number @p index of the SIM into @p gid, which has room for
/// SYS_SIM_CARRIER_GID_SIZE bytes, and its length into @p length. A failure is logged and leaves
/// both as they were.
void GetSIMCarrierGID(std::uint8_t* gid, std::uint8_t* length, std::uint8_t index);
