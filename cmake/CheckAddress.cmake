# umbrant_check_address(name)
# Ends the configuration when the variable called `name` holds anything but an address that is safe in a shell's
# command line: on macOS the panel's buttons hand theirs to one.
function(umbrant_check_address name)
    if(NOT "${${name}}" MATCHES "^[A-Za-z0-9:/._~%#?=+,@][A-Za-z0-9:/._~%#?=+,@-]*$")
        message(FATAL_ERROR "${name} is '${${name}}', but a web address here may hold only letters, digits and "
                            ":/._~%#?=+,@- and may not begin with '-'.")
    endif()
endfunction()
