// Declarations of exactly the Grand Central Dispatch functions and types that
// the macOS backend uses (handing work to the main thread, waiting for it
// with a limit), as Objective-C objects under ARC (OS_OBJECT_USE_OBJC). For
// the syntax check only; each has the signature of the SDK header beside it.
#pragma once

#include <stdint.h>

NS_ASSUME_NONNULL_BEGIN

// --- os/object.h, dispatch/object.h, dispatch/queue.h, dispatch/semaphore.h ---------
@protocol OS_dispatch_queue <NSObject>
@end
typedef NSObject<OS_dispatch_queue>* dispatch_queue_t;
@protocol OS_dispatch_semaphore <NSObject>
@end
typedef NSObject<OS_dispatch_semaphore>* dispatch_semaphore_t;
typedef void (^dispatch_block_t)(void);

#ifdef __cplusplus
extern "C" {
#endif

// --- dispatch/time.h ------------------------------------------------------------------
typedef uint64_t dispatch_time_t;
#define DISPATCH_TIME_NOW (0ull)
#define NSEC_PER_MSEC 1000000ull
dispatch_time_t dispatch_time(dispatch_time_t when, int64_t delta);

// dispatch/queue.h has it as an inline function returning the main queue.
dispatch_queue_t dispatch_get_main_queue(void);
void dispatch_async(dispatch_queue_t queue, dispatch_block_t block);
dispatch_semaphore_t dispatch_semaphore_create(intptr_t value) __attribute__((ns_returns_retained));
intptr_t dispatch_semaphore_wait(dispatch_semaphore_t dsema, dispatch_time_t timeout);
intptr_t dispatch_semaphore_signal(dispatch_semaphore_t dsema);

#ifdef __cplusplus
}  // extern "C"
#endif

NS_ASSUME_NONNULL_END
