#pragma once

#include <condition_variable>
#include <mutex>

// Clang's thread-safety analysis (-Wthread-safety) checks at compile time that data marked as guarded by a
// mutex is touched only with that mutex held. The macros expand to nothing for other compilers.
#if defined(__clang__)
#define CARDIOLITH_THREAD_ANNOTATION(attribute) __attribute__((attribute))
#else
#define CARDIOLITH_THREAD_ANNOTATION(attribute)
#endif

#define CARDIOLITH_CAPABILITY(name) CARDIOLITH_THREAD_ANNOTATION(capability(name))
#define CARDIOLITH_SCOPED_CAPABILITY CARDIOLITH_THREAD_ANNOTATION(scoped_lockable)
#define CARDIOLITH_GUARDED_BY(mutex) CARDIOLITH_THREAD_ANNOTATION(guarded_by(mutex))
#define CARDIOLITH_PT_GUARDED_BY(mutex) CARDIOLITH_THREAD_ANNOTATION(pt_guarded_by(mutex))
#define CARDIOLITH_REQUIRES(...) CARDIOLITH_THREAD_ANNOTATION(requires_capability(__VA_ARGS__))
#define CARDIOLITH_ACQUIRE(...) CARDIOLITH_THREAD_ANNOTATION(acquire_capability(__VA_ARGS__))
#define CARDIOLITH_RELEASE(...) CARDIOLITH_THREAD_ANNOTATION(release_capability(__VA_ARGS__))

namespace cardiolith::detail {

// std::mutex as a capability the analysis knows (the standard library's own mutex carries no annotations).
class CARDIOLITH_CAPABILITY("mutex") Mutex {
 public:
  void lock() CARDIOLITH_ACQUIRE() { mutex_.lock(); }
  void unlock() CARDIOLITH_RELEASE() { mutex_.unlock(); }

 private:
  friend class MutexLock;
  std::mutex mutex_;
};

// Holds a Mutex for its lifetime, like std::lock_guard, and can wait on a condition variable meanwhile.
class CARDIOLITH_SCOPED_CAPABILITY MutexLock {
 public:
  explicit MutexLock(Mutex& mutex) CARDIOLITH_ACQUIRE(mutex) : lock_(mutex.mutex_) {}
  ~MutexLock() CARDIOLITH_RELEASE() {}
  MutexLock(const MutexLock&) = delete;
  MutexLock& operator=(const MutexLock&) = delete;

  // Lets go of the mutex until `condition` is notified (or wakes spuriously), then holds it again: call it
  // in a loop that checks what it waits for.
  void wait(std::condition_variable& condition) { condition.wait(lock_); }

 private:
  std::unique_lock<std::mutex> lock_;
};

}  // namespace cardiolith::detail
