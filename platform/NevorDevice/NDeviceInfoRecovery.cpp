#include "NDeviceInfoRecovery.h"
