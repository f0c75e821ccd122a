// Helper, not installed: writes an image beside its place and puts it there when it is complete.

#ifndef DICTIONARY_IMAGE_FILE_H
#define DICTIONARY_IMAGE_FILE_H

#include <cstddef>
#include <string>

#include "Descriptor.h"
#include "FileStatus.h"

namespace Dictionary {

// All of it throws a SystemFailure. What stands under the name changes in commit() alone, from one
// moment to the next. The folder is held open, so that a change of the working directory or a
// renamed folder does not lead the image astray.
class ImageFile {
public:
    // Sees whether an image could be written under `name`. A symbolic link is followed where the
    // system follows it: the file that it leads to is the one to replace.
    explicit ImageFile(const char* name);
    // Removes what was written, unless it was committed.
    ~ImageFile();

    ImageFile(const ImageFile&) = delete;
    ImageFile& operator=(const ImageFile&) = delete;

    // Whether that is the file to replace.
    bool replaces(const FileStatus& file) const {
        return m_old.has_value() && areSame(m_old, file);
    }

    // The stages, in order. Nobody else can open the image before it is complete.
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
    Descriptor m_folder;      // for its place alone: it need not be readable
    std::string m_name;       // in the folder
    std::string m_temporary;  // likewise; empty when there is none
    Descriptor m_file;
    mode_t m_newFileAccess = 0;  // as the umask or the folder has it
};

}  // namespace Dictionary

#endif
