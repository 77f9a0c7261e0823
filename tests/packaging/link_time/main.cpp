// Sees nothing of Qt, as the program's own main() does.
#include "window.h"

int main(int argc, char** argv) { return showWindow(argc, argv); }
