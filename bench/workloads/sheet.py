"""What every stylesheet begins and ends with."""

STYLESHEET_START = """\
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
<xsl:output method="xml" indent="yes" omit-xml-declaration="yes"/>
<xsl:strip-space elements="*"/>
"""
STYLESHEET_END = "</xsl:stylesheet>\n"
