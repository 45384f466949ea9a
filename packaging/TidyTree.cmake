# SPDX-License-Identifier: MIT
# Runs in cpack, between installing and packing.
set(root "${CPACK_TEMPORARY_INSTALL_DIRECTORY}/usr")

# Folders are everybody's to enter, whatever the rights are that new ones get from the user who packs.
file(CHMOD_RECURSE "${root}" DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

# Programs go without all that running them does not need. (CPACK_STRIP_FILES would leave sections that only name the
# compiler.)
find_program(STRIP strip REQUIRED)
file(GLOB_RECURSE programs "${root}/bin/*" "${root}/libexec/*")
execute_process(
    COMMAND "${STRIP}" --strip-unneeded --remove-section=.comment --remove-section=.note ${programs}
    COMMAND_ERROR_IS_FATAL ANY
)
