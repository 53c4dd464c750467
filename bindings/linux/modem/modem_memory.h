// What is remembered of the modem when the service starts again.
#pragma once

#include <systemd/sd-event.h>

#include <functional>
#include <string>

#include "bindings/linux/event.h"
#include "bindings/posix/files/background_update.h"
#include "bindings/posix/files/file_io.h"

namespace binding {

/// It is in a small file of the state directory, which other programs with this binding change,
/// too, and whose changes are noticed. What is set counts at once, and is on the disk soon after;
/// the destructor waits until it is, however slow the disk.
class ModemMemory {
  public:
    /// Calls @p newChanged when another program has changed the file.
    ModemMemory(sd_event* event, std::function<void()> newChanged);

    /// Whether the user has switched data off.
    bool IsDataOff() const { return known.isDataOff; }
    void SetDataOff(bool isDataOff);

    /// Whether the modem has several SIM slots: ModemManager may need a minute to tell.
    bool HasSeveralSlots() const { return known.hasSeveralSlots; }
    void SetSeveralSlots(bool hasSeveralSlots);

  private:
    struct Known {
        bool isDataOff = false;
        bool hasSeveralSlots = false;

        bool operator==(const Known&) const = default;
    };

    static Known Parse(const std::string& contents);
    void Read();
    void Refresh();
    void Change(const std::function<void(Known& known)>& change);

    std::string path;
    std::function<void()> changed;
    EventSource watch;
    EventSource writtenWatch;
    Known known;
    FileDescriptor written;
    BackgroundUpdate writing;
};

}  // namespace binding
