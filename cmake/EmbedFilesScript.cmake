# Run by the build of host/preview: -DOUTPUT=file.cpp -DFILES=a;b -DROOTS=folder;folder. Writes a table of the files by
# their paths from the first of the folders that has them. Bytes go out as numbers, so no quoting can change them.
set(arrays "")
set(table "")
set(number 0)
foreach(file IN LISTS FILES)
    get_filename_component(name ${file} NAME)
    foreach(root IN LISTS ROOTS)
        cmake_path(IS_PREFIX root ${file} isInside)
        if(isInside)
            file(RELATIVE_PATH name ${root} ${file})
            break()
        endif()
    endforeach()
    get_filename_component(extension ${file} LAST_EXT)
    if(extension STREQUAL ".html")
        set(type "text/html; charset=utf-8")
    elseif(extension STREQUAL ".css")
        set(type "text/css; charset=utf-8")
    elseif(extension STREQUAL ".js")
        set(type "text/javascript; charset=utf-8")
    elseif(extension STREQUAL ".svg")
        set(type "image/svg+xml")
    elseif(extension STREQUAL ".png")
        set(type "image/png")
    else()
        message(FATAL_ERROR "${file}: no media type is known for ${extension}")
    endif()
    if(name STREQUAL "index.html")
        set(name "")
    endif()
    file(SIZE ${file} size)
    file(READ ${file} hex HEX)
    string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," bytes "${hex}")
    string(REGEX REPLACE "(0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,)" "\\1\n"
           bytes "${bytes}")
    string(APPEND arrays "const unsigned char kFile${number}[] = {\n${bytes}};\n")
    string(APPEND table "    {\"${name}\", \"${type}\", {reinterpret_cast<const char*>(kFile${number}), ${size}}},\n")
    math(EXPR number "${number} + 1")
endforeach()
file(WRITE ${OUTPUT} "// Generated from the page's files; do not edit.\n
#include \"host/preview/page_files.h\"\n\nnamespace umbrant::host {\n\nnamespace {\n\n${arrays}
const PageFile kFiles[] = {\n${table}};\n\n}  // namespace\n
const PageFile* FindPageFile(std::string_view name) {
    for (const PageFile& file : kFiles) {
        if (file.name == name) return &file;
    }
    return nullptr;
}\n\n}  // namespace umbrant::host\n")
