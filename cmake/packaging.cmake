# The Debian package: `cpack` in a build tree, or ./dev dist.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGE_VENDOR ${IMGBASIC_AUTHORS})
set(CPACK_PACKAGE_CONTACT ${IMGBASIC_AUTHORS})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Seven filters for layered raster images")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION "Greyscale, two-level conversion, tone inversion, channel decomposition and
merge, colour reduction with dithering, and scaling: a plug-in module, and a
command line that runs it over PNG, JPEG, WebP, TIFF and OpenRaster files.")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
include(CPack)
