#include "Tools/ProfileTimer.h"

ClProfileTimer* g_pProfileTimer = nullptr;

void ClProfileTimer::TimerStart(const char*, ...) {}

void ClProfileTimer::TimerStop(const char*, ...) {}

ClProfileTimer::~ClProfileTimer() = default;
