// Helper, not installed: writes an image beside its place and puts it there when it is complete.

#ifndef DICTIONARY_IMAGE_FILE_H
#define DICTIONARY_IMAGE_FILE_H

#include <cstddef>
#include <string>

#include "Descriptor.h"

namespace Dictionary {

// All of it throws a SystemFailure. What stands under the name changes in commit() alone, from one
// moment to the next. The folder is held open, so that a change of the working directory or a
// renamed folder does not lead the image astray.
class ImageFile {
public:
    // Sees whether an image could be written under `name`. A symbolic link is followed: the file
    // that it leads to is the one to replace.
    explicit ImageFile(const char* name);
    // Removes what was written, unless it was committed.
    ~ImageFile();

    ImageFile(const ImageFile&) = delete;
    ImageFile& operator=(const ImageFile&) = delete;

    // The stages, in order.
    void create();
    void write(const char* bytes, std::size_t size);
    void commit();

private:
    void refuseWhatIsNoImage() const;
    void createTemporary();
    void takeOverAccess() const;

    Descriptor m_folder;
    std::string m_name;       // in the folder
    std::string m_temporary;  // likewise; empty when there is none
    Descriptor m_file;
};

}  // namespace Dictionary

#endif
