#include "PRuntimeLibrary.h"

// Functions without a priority run after every prioritised static initialiser of the library,
// so the configuration record (which has one) is built before the initialiser runs.
__attribute__((constructor)) void _Pallix_Runtime_Dynamic_Library_Init() {}

__attribute__((destructor)) void _Pallix_Runtime_Dynamic_Library_Fini() {}
