#include "leakanalyzer/analysiscontrol.h"
