#include "machine/windows/file_errors.h"

#include <windows.h>

namespace machine {

FileError file_error(uint32_t windows_code) {
    switch (windows_code) {
        case ERROR_SUCCESS:
            return no_error;
        case ERROR_FILE_NOT_FOUND:
            return no_such_file;
        case ERROR_PATH_NOT_FOUND:
        case ERROR_INVALID_DRIVE:
        case ERROR_BAD_NETPATH:
        case ERROR_BAD_NET_NAME:
        case ERROR_DIRECTORY:
        case ERROR_FILENAME_EXCED_RANGE:
            return no_such_path;
        case ERROR_ACCESS_DENIED:
        case ERROR_WRITE_PROTECT:
        case ERROR_SHARING_VIOLATION:
        case ERROR_LOCK_VIOLATION:
        case ERROR_CURRENT_DIRECTORY:
            return permission_denied;
        case ERROR_NOT_READY:
            return device_not_there;
        case ERROR_DISK_FULL:
        case ERROR_HANDLE_DISK_FULL:
            return device_full;
        case ERROR_INVALID_NAME:
            return bad_file_name;
        default:
            return device_error;
    }
}

}  // namespace machine
