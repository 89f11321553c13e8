cmake_minimum_required(VERSION 3.25)
# Hands -DADDRESS to the check of the build's addresses, for the -DSYSTEM named, and looks at what the build itself makes
# of it.
include(${SOURCE}/cmake/CheckAddress.cmake)
string(REPLACE SEMICOLON ";" UMBRANT_TEST_URL "${ADDRESS}")
string(REPLACE NEWLINE "\n" UMBRANT_TEST_URL "${UMBRANT_TEST_URL}")
umbrant_check_address(UMBRANT_TEST_URL ${SYSTEM})
