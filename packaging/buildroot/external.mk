include $(sort $(wildcard $(BR2_EXTERNAL_TOVIK_PATH)/package/*/*.mk))
