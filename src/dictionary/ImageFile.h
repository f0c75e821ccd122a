// Helper, not installed: writes an image beside its place and puts it there when it is complete.

#ifndef DICTIONARY_IMAGE_FILE_H
#define DICTIONARY_IMAGE_FILE_H

#include <cstddef>
#include <string>

#include "Descriptor.h"
#include "FileStatus.h"

namespace Dictionary {

// All functions throw a SystemFailure. Only commit() changes what is under the name, in one step.
// The folder is held open, so that the image goes there even if the working directory changes or
// the folder is renamed.
class ImageFile {
public:
    // Checks that an image can be written under `name`. A symbolic link is followed if the system
    // follows it; then the file that it leads to is the one to replace.
    explicit ImageFile(const char* name);
    // Removes what was written, unless it was committed.
    ~ImageFile();

    ImageFile(const ImageFile&) = delete;
    ImageFile& operator=(const ImageFile&) = delete;

    // Whether `file` is the one to replace.
    bool replaces(const FileStatus& file) const {
        return m_old.has_value() && areSame(m_old, file);
    }

    // The stages, in order. No other user can open the image before it is complete.
    void create();
    void write(const char* bytes, std::size_t size);
    void commit();

private:
    void openFolder(const std::string& folder);
    void createTemporary(mode_t access);
    void removeTemporary();
    void giveAccess() const;
    void syncFolder() const;

    FileStatus m_old;
    Descriptor m_folder;      // only to find files in it; it need not be readable
    std::string m_name;       // in the folder
    std::string m_temporary;  // in the folder; empty if there is none
    Descriptor m_file;
    mode_t m_newFileAccess = 0;  // as the umask or the folder sets it
};

}  // namespace Dictionary

#endif
