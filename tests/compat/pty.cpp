#include "tests/support/pty.cpp"
