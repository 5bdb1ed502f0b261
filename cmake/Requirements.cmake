# What the project needs at least, and what to do where it is missing. The versions are those of
# Debian 12.
set(RUNNER_MINIMUM_GNU 12)
set(RUNNER_MINIMUM_Clang 14)
set(minimum ${RUNNER_MINIMUM_${CMAKE_CXX_COMPILER_ID}})
if(NOT minimum)
  message(WARNING "${CMAKE_CXX_COMPILER_ID} has not been tried; "
    "GCC ${RUNNER_MINIMUM_GNU} and Clang ${RUNNER_MINIMUM_Clang} are known to build this.")
elseif(CMAKE_CXX_COMPILER_VERSION VERSION_LESS minimum)
  message(FATAL_ERROR "${CMAKE_CXX_COMPILER_ID} ${CMAKE_CXX_COMPILER_VERSION} is too old: "
    "C++20 as GCC ${RUNNER_MINIMUM_GNU} and Clang ${RUNNER_MINIMUM_Clang} have it is needed.")
endif()

set(RUNNER_HINT "scripts/install-deps build installs it on Debian and its relatives.")

find_package(OpenSSL 3.0 COMPONENTS Crypto)
if(NOT OpenSSL_FOUND)
  message(FATAL_ERROR "OpenSSL 3.0 or newer is needed, with its headers. ${RUNNER_HINT}")
endif()

find_package(PkgConfig)
if(NOT PkgConfig_FOUND)
  message(FATAL_ERROR "pkg-config is needed. ${RUNNER_HINT}")
endif()

pkg_check_modules(GnuTLS IMPORTED_TARGET gnutls>=3.7)
if(NOT GnuTLS_FOUND)
  message(FATAL_ERROR "GnuTLS 3.7 or newer is needed, with its headers. ${RUNNER_HINT}")
endif()
