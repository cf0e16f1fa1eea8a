# Writes the shipped mapping templates as a C++ table, so that a program can choose among them without parsing
# their XML (the command line does on every run). Script mode:
#   cmake -DOUTPUT=file.cpp -DTEMPLATES=a.xml|b.xml -P ShippedTemplateTable.cmake
# It reads the files as the template writer lays them out (one "item" element per node, in node order, with
# double-quoted attributes); a test checks the table against what the template reader makes of the same files.
cmake_minimum_required(VERSION 3.25)

# "&amp;" last, so that "&amp;lt;" stays "&lt;".
function(xml_unescape text out)
    string(REPLACE "<semicolon>" ";" text "${text}")
    string(REGEX REPLACE "&(lt|gt|quot|apos|amp);" "" bare "${text}")
    if(bare MATCHES "&")
        message(FATAL_ERROR "${file}: an entity other than the five XML names in \"${text}\"")
    endif()
    string(REPLACE "&lt;" "<" text "${text}")
    string(REPLACE "&gt;" ">" text "${text}")
    string(REPLACE "&quot;" "\"" text "${text}")
    string(REPLACE "&apos;" "'" text "${text}")
    string(REPLACE "&amp;" "&" text "${text}")
    set(${out} "${text}" PARENT_SCOPE)
endfunction()

function(cpp_literal text out)
    string(REPLACE "\\" "\\\\" text "${text}")
    string(REPLACE "\"" "\\\"" text "${text}")
    set(${out} "\"${text}\"" PARENT_SCOPE)
endfunction()

string(REPLACE "|" ";" template_files "${TEMPLATES}")
set(entries_text "")
set(table_text "")
set(index 0)
list(LENGTH template_files template_count)
foreach(file IN LISTS template_files)
    get_filename_component(name ${file} NAME_WE)
    file(READ ${file} content)
    # CMake lists split at semicolons; none may reach the list commands.
    string(REPLACE ";" "<semicolon>" content "${content}")
    string(REGEX MATCH "<match_list>(.*)</match_list>" match_list "${content}")
    if(NOT match_list)
        message(FATAL_ERROR "${file}: no match_list")
    endif()
    string(REGEX MATCHALL "<item[ \t\r\n][^>]*>" items "${CMAKE_MATCH_1}")
    set(node 0)
    set(count 0)
    set(rows "")
    foreach(item IN LISTS items)
        if(NOT item MATCHES "[ \t\r\n]value=\"([^\"]*)\"")
            message(FATAL_ERROR "${file}: item ${node} has no double-quoted value")
        endif()
        xml_unescape("${CMAKE_MATCH_1}" pattern)
        set(use_root false)
        if(item MATCHES "[ \t\r\n]use_root=\"[Tt][Rr][Uu][Ee]\"")
            set(use_root true)
        endif()
        if(NOT pattern STREQUAL "" OR use_root)
            cpp_literal("${pattern}" literal)
            string(APPEND rows "    {${node}, ${literal}, ${use_root}},\n")
            math(EXPR count "${count} + 1")
        endif()
        math(EXPR node "${node} + 1")
    endforeach()
    cpp_literal("${name}" name_literal)
    if(count EQUAL 0)
        string(APPEND table_text "    {${name_literal}, nullptr, 0},\n")
    else()
        string(APPEND entries_text "const ShippedTemplateTable::Entry Entries${index}[] = {\n${rows}};\n")
        string(APPEND table_text "    {${name_literal}, Entries${index}, ${count}},\n")
    endif()
    math(EXPR index "${index} + 1")
endforeach()

file(CONFIGURE OUTPUT ${OUTPUT} @ONLY CONTENT "// Made at build time from the shipped template files; edit those instead.
#include \"ShippedTemplateTable.h\"

namespace
{
@entries_text@} // namespace

const ShippedTemplateTable::Template ShippedTemplateTable::Templates[] = {
@table_text@};
const int ShippedTemplateTable::Count = @template_count@;
")
