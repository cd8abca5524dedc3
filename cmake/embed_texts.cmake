# Run by tovik_embed_dashboard: writes the FILES as raw string literals into the C++ source OUTPUT.
set(rows "")
set(source "#include \"tools/service/control/dashboard.h\"\n\nnamespace tovik_service::control {\n\nnamespace {\n")
file(WRITE ${OUTPUT}.new "${source}")
set(number 0)
foreach(file IN LISTS FILES)
  get_filename_component(name ${file} NAME)
  file(READ ${file} text)
  string(FIND "${text}" ")tovik\"" end)
  if(NOT end EQUAL -1)
    message(FATAL_ERROR "${file}: holds the end mark of the literal that it has to go into")
  endif()
  math(EXPR number "${number} + 1")
  file(APPEND ${OUTPUT}.new "\nconstexpr std::string_view text${number} = R\"tovik(")
  file(APPEND ${OUTPUT}.new "${text}")
  file(APPEND ${OUTPUT}.new ")tovik\";\n")
  string(APPEND rows "        {\"${name}\", text${number}},\n")
endforeach()
file(APPEND ${OUTPUT}.new "
} // namespace

const std::vector<DashboardFile>& dashboardFiles()
{
    static const std::vector<DashboardFile> files{
${rows}    };
    return files;
}

} // namespace tovik_service::control
")
file(RENAME ${OUTPUT}.new ${OUTPUT})
