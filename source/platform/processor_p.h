#pragma once

#include "platform/processor.h"
