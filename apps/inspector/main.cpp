#include "apps/inspector/program.h"

int main(int argc, char** argv) { return vexqt::inspector_app::run(argc, argv); }
