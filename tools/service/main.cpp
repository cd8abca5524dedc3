#include "tools/service/application.h"

#include <exception>
#include <iostream>

int main(int argc, char** argv)
{
    try {
        const tovik_service::ParsedOptions parsed = tovik_service::parseOptions(argc, argv);
        return parsed.exit_code ? *parsed.exit_code : tovik_service::run(parsed.options);
    } catch (const std::exception& error) {
        std::cerr << "tovik-cloud: " << error.what() << '\n';
        return tovik_service::exit_failure;
    }
}
