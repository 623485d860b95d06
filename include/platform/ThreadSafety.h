#pragma once

// Says to clang's -Wthread-safety which lock guards what; nothing to other compilers.

#ifdef __clang__
// For clang's check of locks; nothing for other compilers.
#define KX_THREAD_ATTRIBUTE(x) __attribute__((x))
#else
#define KX_THREAD_ATTRIBUTE(x)
#endif

// These tell clang of a lock, or of an operation that takes or needs one.
#define KX_CAPABILITY(name) KX_THREAD_ATTRIBUTE(capability(name))
#define KX_SCOPED_CAPABILITY KX_THREAD_ATTRIBUTE(scoped_lockable)
#define KX_GUARDED_BY(lock) KX_THREAD_ATTRIBUTE(guarded_by(lock))
#define KX_REQUIRES(...) KX_THREAD_ATTRIBUTE(requires_capability(__VA_ARGS__))
#define KX_ACQUIRE(...) KX_THREAD_ATTRIBUTE(acquire_capability(__VA_ARGS__))
#define KX_RELEASE(...) KX_THREAD_ATTRIBUTE(release_capability(__VA_ARGS__))
#define KX_NO_LOCK_ANALYSIS KX_THREAD_ATTRIBUTE(no_thread_safety_analysis)
