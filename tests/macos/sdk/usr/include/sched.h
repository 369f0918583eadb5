#pragma once

extern "C" int sched_yield(void);
