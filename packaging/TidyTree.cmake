# SPDX-License-Identifier: MIT
# cpack runs this script after the installation into a temporary folder and before it creates the package.
set(root "${CPACK_TEMPORARY_INSTALL_DIRECTORY}/usr")

# Sets the permissions of folders independently of the umask.
file(CHMOD_RECURSE "${root}" DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

# Removes symbols and comment sections from the programs. CPACK_STRIP_FILES keeps the comment sections.
find_program(STRIP strip REQUIRED)
file(GLOB_RECURSE programs "${root}/bin/*" "${root}/libexec/*")
execute_process(
    COMMAND "${STRIP}" --strip-unneeded --remove-section=.comment --remove-section=.note ${programs}
    COMMAND_ERROR_IS_FATAL ANY
)
