#include "model/reading_arena.hpp"

#include <algorithm>
#include <memory>

namespace cardiolith {
namespace {

// Blocks start small, so a document of a few readings costs a few kilobytes, and double up to a limit.
constexpr std::size_t kFirstCapacity = 4 * 1024;
constexpr std::size_t kLargestCapacity = 64 * 1024;

constexpr std::size_t roundUp(std::size_t size) {
  constexpr std::size_t kAlignment = alignof(std::max_align_t);
  return (size + kAlignment - 1) / kAlignment * kAlignment;
}

}  // namespace

// A header followed by `capacity` bytes of slots, in one allocation.
class ReadingArena::Block {
 public:
  static Block* make(std::size_t capacity) {
    void* memory = ::operator new(roundUp(sizeof(Block)) + capacity);
    return ::new (memory) Block(capacity);
  }

  bool hasRoom() const noexcept { return used_ + kMaxObjectSize <= capacity_; }

  void* take(std::size_t size) noexcept {
    void* slot = reinterpret_cast<std::byte*>(this) + roundUp(sizeof(Block)) + used_;
    used_ += roundUp(size);
    holders_.fetch_add(1, std::memory_order_relaxed);
    return slot;
  }

  // The last holder frees the block; acquire-release, so that every other holder's use of its slot
  // happens before the memory is returned.
  void release() noexcept {
    if (holders_.fetch_sub(1, std::memory_order_acq_rel) == 1) {
      this->~Block();
      ::operator delete(this);
    }
  }

 private:
  explicit Block(std::size_t capacity) : capacity_(capacity) {}

  std::atomic<std::size_t> holders_{1};  // the live objects, and the arena while it fills the block
  std::size_t used_ = 0;
  const std::size_t capacity_;
};

ReadingArena::~ReadingArena() {
  if (current_ != nullptr) current_->release();
}

void* ReadingArena::takeSlot(Block* block, std::size_t size) noexcept { return block->take(size); }

void ReadingArena::releaseSlot(Block* block) noexcept { block->release(); }

bool ReadingArena::hasRoom(const Block* block) noexcept { return block->hasRoom(); }

void ReadingArena::startBlock() {
  capacity_ = capacity_ == 0 ? kFirstCapacity : std::min(2 * capacity_, kLargestCapacity);
  Block* next = Block::make(capacity_);
  if (current_ != nullptr) current_->release();
  current_ = next;
}

}  // namespace cardiolith
