// The page that `view` fills in, from Page.html.

#ifndef DICTOOL_PAGE_H
#define DICTOOL_PAGE_H

namespace dictool {

extern const char kPage[];

}  // namespace dictool

#endif
