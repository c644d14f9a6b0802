// The native process procedure registered for the effect's component.
#pragma once

#include "S_Alg_Context.h"

void AAXWrapper_AlgorithmProcessFunction(S_Alg_Context* const inInstancesBegin[], const void* inInstancesEnd);
