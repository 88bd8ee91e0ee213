#pragma once

// Which lock guards what, for clang's -Wthread-safety. Other compilers pass over the marks.
#if defined(__clang__)
#define SENSOR_THREAD_MARK(mark) __attribute__((mark))
#else
#define SENSOR_THREAD_MARK(mark)
#endif

/// A class that is a lock, and one that holds a lock for a scope.
#define SENSOR_LOCK SENSOR_THREAD_MARK(capability("mutex"))
#define SENSOR_SCOPED_LOCK SENSOR_THREAD_MARK(scoped_lockable)

/// Data that is touched with the lock held alone.
#define SENSOR_GUARDED_BY(lock) SENSOR_THREAD_MARK(guarded_by(lock))

/// What a function does with locks: takes, gives back, wants held.
#define SENSOR_ACQUIRES(...) SENSOR_THREAD_MARK(acquire_capability(__VA_ARGS__))
#define SENSOR_RELEASES(...) SENSOR_THREAD_MARK(release_capability(__VA_ARGS__))
#define SENSOR_REQUIRES(...) SENSOR_THREAD_MARK(requires_capability(__VA_ARGS__))

/// The body is a lock's own, which the checker can not follow.
#define SENSOR_UNCHECKED SENSOR_THREAD_MARK(no_thread_safety_analysis)
