# umbrant_check_address(name [MACOS])
# Ends the configuration when the variable called `name` does not hold a complete https address (RFC 3986). With MACOS,
# and in a build for macOS, it also refuses the characters that a shell acts on: there a shell opens the address, without
# quotes. `?`, `[` and `]` are accepted: to the shell they form a pattern that matches no file and is left as it is, and
# percent-encoded they would mean something else.
function(umbrant_check_address name)
    set(address "${${name}}")
    # The address with each percent-encoded character replaced by a letter.
    string(REGEX REPLACE "%[0-9A-Fa-f][0-9A-Fa-f]" "x" plain "${address}")
    set(letters "A-Za-z0-9._~!$&'()*+,;=")
    set(valid FALSE)
    if(plain MATCHES "^[Hh][Tt][Tt][Pp][Ss]://([^/?#]*)(.*)$")
        set(authority "${CMAKE_MATCH_1}")
        set(rest "${CMAKE_MATCH_2}")
        if(rest MATCHES "^(/[${letters}:@/-]*)?([?][${letters}:@/?-]*)?(#[${letters}:@/?-]*)?$"
           AND authority MATCHES "^([${letters}:-]*@)?([${letters}-]+|[[][0-9A-Fa-f:.]+])(:([0-9]*))?$"
           AND NOT CMAKE_MATCH_4 GREATER 65535)
            set(valid TRUE)
        endif()
    endif()
    if(NOT valid)
        message(FATAL_ERROR "${name} is '${address}', which is not a complete https address. Give one such as "
                            "https://example.com/support?topic=shadows#top, with every character that has no place in an "
                            "address percent-encoded: a space is %20.")
    endif()

    if(NOT APPLE AND NOT "MACOS" IN_LIST ARGN)
        return()
    endif()
    set(characters "&()$'*;")
    foreach(code %26 %28 %29 %24 %27 %2A %3B)
        string(SUBSTRING "${characters}" 0 1 character)
        string(SUBSTRING "${characters}" 1 -1 characters)
        string(FIND "${address}" "${character}" place)
        if(NOT place EQUAL -1)
            message(FATAL_ERROR "${name} is '${address}', but on macOS a shell opens the address and acts on "
                                "${character}. Write that character as ${code}.")
        endif()
    endforeach()
endfunction()
