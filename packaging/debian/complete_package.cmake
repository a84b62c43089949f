# Run by CPack on the files that are going to be packed.
if(CPACK_QUILP_TOOL_OF_NO_PACKAGE)
  message(FATAL_ERROR "${CPACK_QUILP_TOOL_OF_NO_PACKAGE} belongs to no Debian package, so ours cannot "
    "depend on it. Take it out of the way, so that it is fetched and carried along.")
endif()
set(root "${CPACK_TEMPORARY_INSTALL_DIRECTORY}")

# The packages of the libraries that our own programs load.
set(work "${CPACK_TOPLEVEL_DIRECTORY}/libraries")
file(WRITE "${work}/debian/control" "Source: quilp\n\nPackage: quilp\nArchitecture: any\n")
file(MAKE_DIRECTORY "${root}/DEBIAN")  # By this dpkg-shlibdeps knows the root, and our own library.
file(GLOB programs "${root}/usr/bin/*" "${root}/usr/lib/quilp/*.so" "${root}/usr/lib/quilp/*/*.so")
execute_process(COMMAND dpkg-shlibdeps -O --ignore-missing-info ${programs}
  WORKING_DIRECTORY "${work}"
  OUTPUT_VARIABLE found OUTPUT_STRIP_TRAILING_WHITESPACE
  COMMAND_ERROR_IS_FATAL ANY)
file(REMOVE_RECURSE "${root}/DEBIAN")
string(REGEX REPLACE "^shlibs:Depends=" "" found "${found}")
set(CPACK_DEBIAN_PACKAGE_DEPENDS "${found}, ${CPACK_DEBIAN_PACKAGE_DEPENDS}")

set(overrides "${root}/usr/share/lintian/overrides")
file(MAKE_DIRECTORY "${overrides}")
file(COPY_FILE "${CPACK_QUILP_DEBIAN_FOLDER}/lintian-overrides" "${overrides}/quilp")
