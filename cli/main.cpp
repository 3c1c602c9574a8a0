#include "cli/RenderDriver.h"

int main(int argc, char** argv)
{
    return runRenderer(argc, argv);
}
