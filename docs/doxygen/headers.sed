# SPDX-License-Identifier: MIT
# What Doxygen sees of a header: the job of the file, paragraphs for units, errors, threads; nothing private, and
# no lines that copy and move as everywhere.
2s,^// ,/// @thisfile ,
s/^ .*[^ ].* = (default|delete);$//
s,^( *///) (Errors|Lifetime|Shape|Threads|Units): +,\1 @\L\2 ,
s,^( *///.*) (Threads|Units): +,\1 @\L\2 ,
/^private/,/^(\};|public|protected|Q_SIGNALS)/{
    /^(\};|public|protected|Q_SIGNALS)/!s/.*//
}
