#include "cli/commands/commandLine.h"
#include "platform/outputSignals.h"
#include "platform/programStart.h"

int main(int argc, char** argv) {
    zellab::platform::prepareProgram();
    zellab::platform::removeUnfinishedFilesOnSignals();
    return zelcli::runCommand(zellab::platform::programArguments(argc, argv));
}
