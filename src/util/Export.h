/* SPDX-License-Identifier: MIT
 *
 * The mark of the plain names that a bundle exports. Everything else in a bundle is hidden; the
 * names themselves are listed in src/exported-names.txt. C11 and C++20.
 */
#ifndef VORN_UTIL_EXPORT_H
#define VORN_UTIL_EXPORT_H

#define VORN_EXPORT __attribute__((visibility("default")))

#endif
