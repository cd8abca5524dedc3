SUMMARY = "Cloud driver plug-in and driver framework for an HMI runtime"
LICENSE = "MIT"
LIC_FILES_CHKSUM = "file://LICENSE;md5=39144835cee084a3b685e30bd59cb3cc"

# The tree that this layer is a part of.
inherit externalsrc cmake_qt5
EXTERNALSRC = "${@os.path.realpath(d.getVar('THISDIR') + '/../../../..')}"

DEPENDS = "qtbase qtserialport"
# Qt loads it when the first request goes out, so that nothing links it.
RDEPENDS:${PN} = "libssl"

# The folder with picojson.h 1.3.0, a single header; set it in local.conf.
TOVIK_PICOJSON ?= ""
EXTRA_OECMAKE = "-DTOVIK_TOOLS=OFF -DTOVIK_EXAMPLES=OFF -DTOVIK_TESTS=OFF -DPICOJSON_INCLUDE_DIR=${TOVIK_PICOJSON}"
