################################################################################
#
# tovik-iot
#
################################################################################

TOVIK_IOT_VERSION = 1.6.83
# The tree that this folder is a part of.
TOVIK_IOT_SITE = $(realpath $(BR2_EXTERNAL_TOVIK_PATH)/../..)
TOVIK_IOT_SITE_METHOD = local
TOVIK_IOT_LICENSE = MIT
TOVIK_IOT_LICENSE_FILES = LICENSE
TOVIK_IOT_INSTALL_STAGING = YES
TOVIK_IOT_DEPENDENCIES = openssl qt5base qt5serialport
TOVIK_IOT_CONF_OPTS = \
	-DTOVIK_TOOLS=OFF \
	-DTOVIK_EXAMPLES=OFF \
	-DTOVIK_TESTS=OFF \
	-DPICOJSON_INCLUDE_DIR=$(call qstrip,$(BR2_PACKAGE_TOVIK_IOT_PICOJSON))

$(eval $(cmake-package))
