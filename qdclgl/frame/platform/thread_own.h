// A variable of each thread that has something to release.
//
// A plain thread_local serves where its destructor is sure to run before the memory goes. Under
// Windows a library may be unloaded before the thread ends, and g++ there frees a thread's
// variables before it destroys them; so that the system itself is asked to keep the thread's
// pointer.
#pragma once

namespace qdclgl {

#ifdef _WIN32

// A pointer of each thread. `release` is called with it when the thread ends, or with those of all
// threads when the slot is destroyed, which is when the library is unloaded.
class ThreadSlot {
 public:
  using Release = void(__stdcall*)(void*);

  explicit ThreadSlot(Release release);
  ~ThreadSlot();
  ThreadSlot(const ThreadSlot&) = delete;
  ThreadSlot& operator=(const ThreadSlot&) = delete;

  void* Get() const;
  void Set(void* pointer);

 private:
  unsigned long index_;
};

// The calling thread's own T, made on first use.
template <class T>
T& ThreadOwn() {
  struct Own {
    static void __stdcall Release(void* own) { delete static_cast<T*>(own); }
  };
  static ThreadSlot slot(Own::Release);
  auto* own = static_cast<T*>(slot.Get());
  if (own == nullptr) {
    own = new T;
    slot.Set(own);
  }
  return *own;
}

#else

template <class T>
T& ThreadOwn() {
  thread_local T own;
  return own;
}

#endif

}  // namespace qdclgl
