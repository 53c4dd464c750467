// The memory card.
#pragma once

#include <memory>
#include <optional>

#include "bindings/linux/event.h"
#include "bindings/linux/kernel/uevents.h"
#include "bindings/linux/source.h"
#include "bindings/linux/storage/memory_card.h"
#include "bindings/posix/files/file_io.h"

namespace binding {

class CardSource : public Source {
  public:
    explicit CardSource(Board& newBoard) : Source(newBoard, "memory-card") {}

    void Start() override;
    /// Reads the free space again: nobody tells of its changes.
    void Check() override { Read(); }
    void Fill(Device& device) const override;
    void Fail(Device& device, int code) const override;
    nlohmann::json Said() const override;

  private:
    void Read();

    std::optional<MemoryCard> card;
    sys_sd_card_info_t space{};
    std::optional<FileDescriptor> mounts;
    EventSource mountChanges;
    std::unique_ptr<Uevents> events;
};

}  // namespace binding
