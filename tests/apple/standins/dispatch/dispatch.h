#pragma once

#ifdef __cplusplus
extern "C" {
#endif

typedef struct dispatch_queue_s* dispatch_queue_t;
typedef struct dispatch_group_s* dispatch_group_t;
typedef void (*dispatch_function_t)(void* context);

#define DISPATCH_QUEUE_PRIORITY_DEFAULT 0

dispatch_queue_t dispatch_get_main_queue(void);
dispatch_queue_t dispatch_get_global_queue(long priority, unsigned long flags);
void dispatch_async_f(dispatch_queue_t queue, void* context, dispatch_function_t work);

dispatch_group_t dispatch_group_create(void);
void dispatch_group_async_f(dispatch_group_t group, dispatch_queue_t queue, void* context,
                            dispatch_function_t work);
void dispatch_group_notify_f(dispatch_group_t group, dispatch_queue_t queue, void* context,
                             dispatch_function_t work);
void dispatch_release(dispatch_group_t group);

#ifdef __cplusplus
}
#endif
