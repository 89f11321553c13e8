#include "host/validate/trial.h"
std::vector<Check> ResultChecks() { return {}; }
