# Writes a C++ source that holds text files as string literals:
#   cmake -DOUTPUT=x.cpp -DROOT=folder "-DFILES=a.sql|b.tsv" -P embed_files.cmake
# The table embeddedFiles of host/embedded_files.h lists them by their path below ROOT.
string(REPLACE "|" ";" FILES "${FILES}")
set(text "#include \"host/embedded_files.h\"\n\nnamespace vicenter::host {\n\n")
string(APPEND text "const std::vector<EmbeddedFile>& EmbeddedFiles() {\n")
string(APPEND text "    static const std::vector<EmbeddedFile> files{\n")
foreach(file ${FILES})
  file(READ "${ROOT}/${file}" content)
  string(APPEND text "        {\"${file}\", R\"embedded(")
  string(APPEND text "${content}")
  string(APPEND text ")embedded\"},\n")
endforeach()
string(APPEND text "    };\n    return files;\n}\n\n}  // namespace vicenter::host\n")
file(WRITE "${OUTPUT}" "${text}")
