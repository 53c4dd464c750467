// The document of the board, read again whenever its file changes.
#pragma once

#include <systemd/sd-event.h>

#include <functional>
#include <string>

#include "bindings/linux/board_document.h"
#include "bindings/linux/event.h"

namespace binding {

/// The last good document. One with an error is logged once, and the one before stays in force.
class WatchedDocument {
  public:
    using OnRead = std::function<void(const Settings& before)>;

    /// Reads the document now, and each time its file changes. After each good one, calls @p
    /// newRead with the settings of the one before.
    void Begin(sd_event* event, OnRead newRead);
    /// Notices no changes until it begins again.
    void End() { watch.Reset(); }

    const Device& Answers() const { return document.device; }
    const Settings& GetSettings() const { return document.settings; }

  private:
    void Watch(sd_event* event);
    void Read();

    OnRead onRead;
    EventSource watch;
    BoardDocument document;
    /// Whether there is a good one.
    bool hasRead = false;
    /// What is wrong with the one read last; empty if nothing is.
    std::string problem;
};

}  // namespace binding
