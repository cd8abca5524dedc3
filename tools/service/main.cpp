#include "tools/service/application.h"

int main(int argc, char** argv)
{
    const tovik_service::ParsedOptions parsed = tovik_service::parseOptions(argc, argv);
    return parsed.exit_code ? *parsed.exit_code : tovik_service::run(parsed.options);
}
