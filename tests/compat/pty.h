#include "tests/support/pty.h"
