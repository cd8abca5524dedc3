# What reads and writes JSON in the tools and the tests links tovik_json.
find_package(nlohmann_json 3.10 CONFIG REQUIRED)
add_library(tovik_json INTERFACE)
target_link_libraries(tovik_json INTERFACE nlohmann_json::nlohmann_json)
# Paths are texts here, and <filesystem> takes a tenth of what the header costs each source. All have to say so
# alike: the templates are the same.
target_compile_definitions(tovik_json INTERFACE JSON_HAS_FILESYSTEM=0 JSON_HAS_EXPERIMENTAL_FILESYSTEM=0)
