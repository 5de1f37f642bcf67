# Writes the files of the page into one C++ source: cmake -D PAGE=<folder> -D FILES="a;b" -D OUT=<file> -P embed.cmake
set(types_html "text/html; charset=utf-8")
set(types_css "text/css; charset=utf-8")
set(types_js "text/javascript; charset=utf-8")
set(types_svg "image/svg+xml")

set(arrays "")
set(rows "")
set(number 0)
foreach(name IN LISTS FILES)
  file(READ ${PAGE}/${name} bytes HEX)
  string(REGEX REPLACE "(..)" "0x\\1," bytes "${bytes}")
  # Lines of a length that compilers and people bear.
  string(REGEX REPLACE "(0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,)" "\\1\n"
    bytes "${bytes}")
  string(REGEX MATCH "[a-z]+$" suffix "${name}")
  if(name STREQUAL "index.html")
    set(name "")
  endif()
  string(APPEND arrays "constexpr unsigned char kFile${number}[] = {\n${bytes}};\n")
  string(APPEND rows "    {\"${name}\", \"${types_${suffix}}\", bytesOf(kFile${number})},\n")
  math(EXPR number "${number} + 1")
endforeach()

file(WRITE ${OUT} "#include \"cli/studio/page.h\"

namespace zelcli::studio {

namespace {

${arrays}
template <std::size_t N>
std::string_view bytesOf(const unsigned char (&bytes)[N]) {
    return {reinterpret_cast<const char*>(bytes), N};
}

const PageFile kFiles[] = {
${rows}};

}  // namespace

const PageFile* findPageFile(std::string_view name) {
    for (const PageFile& file : kFiles)
        if (file.name == name) return &file;
    return nullptr;
}

}  // namespace zelcli::studio
")
