# Options that make a mistake in the code harder to exploit. Every build has them, so that the tests run what is released;
# only FORTIFY needs an optimised build. `tests/packaging/hardened` checks the files that come out.
include_guard()
include(CheckCXXCompilerFlag)
include(CheckPIESupported)

check_pie_supported()
# Qt's libraries use their own data where it lies, so a program must not have copies of it. -fPIE allows copies, which
# shows where a distribution builds with link-time optimisation: the program ends at its start.
set(CMAKE_CXX_COMPILE_OPTIONS_PIE -fPIC)
set(CMAKE_CXX_LINK_OPTIONS_PIE -pie)

add_compile_options(-fstack-protector-strong)
# Not every processor and compiler has these; clang only warns of what it leaves out.
set(CMAKE_REQUIRED_FLAGS -Werror)
foreach(flag IN ITEMS -fstack-clash-protection -fcf-protection=full -mbranch-protection=standard)
    string(MAKE_C_IDENTIFIER "VORRANO_HAS${flag}" supported)
    check_cxx_compiler_flag("${flag}" ${supported})
    if(${supported})
        add_compile_options("${flag}")
    endif()
endforeach()
unset(CMAKE_REQUIRED_FLAGS)

# A distribution's own flags may have set a lower level before.
set(optimised "$<CONFIG:Release,RelWithDebInfo,MinSizeRel>")
add_compile_options("$<${optimised}:-U_FORTIFY_SOURCE>" "$<${optimised}:-D_FORTIFY_SOURCE=3>")

# The standard library checks indexes and optionals, and ends the program where one is wrong.
add_compile_options(-D_GLIBCXX_ASSERTIONS)

# With immediate binding the loader can make the table of functions read-only before the program begins.
add_link_options(-Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack)
