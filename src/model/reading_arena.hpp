#pragma once

#include <atomic>
#include <cstddef>
#include <new>

namespace cardiolith {

// Memory for the many readings of one decoded document. Each reading (its shared-pointer control block
// and the record, in one piece) takes the next slot of a block, and a block is freed when the last
// reading in it is destroyed. Allocating a million small records one by one, interleaved with their
// strings, leaves the general-purpose heap so fragmented that freeing them later costs more than
// decoding did; side by side in blocks they cost one allocation per block.
//
// A block outlives any one reading in it, so a long-lived reading keeps its whole block (at most 64 KiB)
// alive. The arena fills blocks on one thread; the readings may be destroyed on any thread.
class ReadingArena {
 public:
  // The largest object one slot holds: a Reading with its control block fits with room to spare.
  static constexpr std::size_t kMaxObjectSize = 512;

  class Block;

  // An allocator for std::allocate_shared that takes one slot of one block.
  template <class T>
  class Allocator {
   public:
    using value_type = T;

    explicit Allocator(Block* block) noexcept : block_(block) {}
    template <class U>
    Allocator(const Allocator<U>& other) noexcept : block_(other.block()) {}

    T* allocate(std::size_t count) {
      static_assert(sizeof(T) <= kMaxObjectSize, "a slot is too small for this object");
      static_assert(alignof(T) <= alignof(std::max_align_t), "a slot is not aligned for this object");
      if (count != 1) throw std::bad_alloc();  // allocate_shared asks for exactly one object
      return static_cast<T*>(takeSlot(block_, sizeof(T)));
    }
    void deallocate(T*, std::size_t) noexcept { releaseSlot(block_); }

    Block* block() const noexcept { return block_; }
    template <class U>
    bool operator==(const Allocator<U>& other) const noexcept {
      return block_ == other.block();
    }

   private:
    Block* block_;
  };

  ReadingArena() = default;
  ReadingArena(const ReadingArena&) = delete;
  ReadingArena& operator=(const ReadingArena&) = delete;
  ~ReadingArena();

  // An allocator for the next object, with room for one of up to kMaxObjectSize bytes in its block.
  template <class T>
  Allocator<T> allocator() {
    if (current_ == nullptr || !hasRoom(current_)) startBlock();
    return Allocator<T>(current_);
  }

 private:
  static void* takeSlot(Block* block, std::size_t size) noexcept;
  static void releaseSlot(Block* block) noexcept;
  static bool hasRoom(const Block* block) noexcept;
  void startBlock();

  Block* current_ = nullptr;
  std::size_t capacity_ = 0;  // the size of current_'s slots, which grows with each block
};

}  // namespace cardiolith
