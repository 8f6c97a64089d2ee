#include "Tool.h"

int main(int argc, char** argv) { return velmorquit::tmutil::run(argc, argv); }
