// Linked with the kernels' emulated form.
#include "lanes/Lanes.h"

const bool emulated_form_is_linked = true;
