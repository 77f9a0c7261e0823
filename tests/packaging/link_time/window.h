#pragma once

// Shows a window and closes it.
int showWindow(int argc, char** argv);
