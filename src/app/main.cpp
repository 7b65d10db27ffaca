#include "shell/Shell.h"

int main(int argc, char *argv[])
{
    TarvikApplication app(argc, argv);
    return Shell::run(app);
}
