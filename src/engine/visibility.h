/** What shared libraries show: nothing but what is marked as public. */
#ifndef VIDEODOWN_ENGINE_VISIBILITY_H
#define VIDEODOWN_ENGINE_VISIBILITY_H

/** In front of the name of a class or namespace, or of a function or variable: can be linked with.
 */
#define VIDEODOWN_PUBLIC [[gnu::visibility("default")]]

#endif
