# Run by CPack on the files to be packaged.
if(CPACK_QUILP_UNPACKAGED_TOOL)
  message(FATAL_ERROR "${CPACK_QUILP_UNPACKAGED_TOOL} does not belong to a Debian package, so the "
    "package cannot depend on it. Uninstall it, so that scripts/set_up downloads and bundles it.")
endif()
set(root "${CPACK_TEMPORARY_INSTALL_DIRECTORY}")

# Depend on the packages of the libraries that the project's programs load.
set(work "${CPACK_TOPLEVEL_DIRECTORY}/libraries")
file(WRITE "${work}/debian/control" "Source: quilp\n\nPackage: quilp\nArchitecture: any\n")
file(MAKE_DIRECTORY "${root}/DEBIAN")  # Marks the package's root for dpkg-shlibdeps.
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
