// System-interface SDK: the SIM.
#include "not_supported.h"
#include "platform/sysint.h"

// State of the SIM in use (AT+CPIN?) as a sys_sim_status_e.
int sys_getSIMStatus(int* /*status*/) {
    return kNotSupported;
}

// Bytes of the SIM's file EF-GID1 (index 1), and how many there are.
int sys_getSIMCarrierGID(std::uint8_t* /*gid*/, std::uint8_t* /*length*/, std::uint8_t /*index*/) {
    return kNotSupported;
}

// Identity of the subscriber (AT+CIMI).
int sys_getSubscriberInfo(sys_subscriber_info_t* /*info*/) {
    return kNotSupported;
}

// carrierBlocked is 1 for a SIM that the carrier does not admit.
int sys_getNetworkSIMLockStatus(sys_network_sim_lock_t* /*lock*/) {
    return kNotSupported;
}

// Cause of the last reject of a registration; 0 when there was none.
int sys_getSIMNetworkRejectCode(int* /*code*/) {
    return kNotSupported;
}

// Number of the slot in use, from 1.
int sys_getActiveSimSlot(int* /*slot*/) {
    return kNotSupported;
}

// Number of SIMs in the device.
int sys_getNumSims(int* /*count*/) {
    return kNotSupported;
}

// One entry for each slot, two at most, and how many there are.
int sys_getAllSimSlotsInfo(sys_all_sim_slots_t* /*slots*/) {
    return kNotSupported;
}
