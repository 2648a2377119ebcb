#include "middleware/xml/document.h"

void ZULXMLDocument_delete(ZULXMLDocument* self) {
    if (self != nullptr) {
        ZULXMLObject_delete(self->root);
        delete self;
    }
}
