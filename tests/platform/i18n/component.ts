<?xml version="1.0" encoding="utf-8"?>
<!-- SPDX-License-Identifier: Apache-2.0 -->
<!DOCTYPE TS>
<TS version="2.1" language="en">
<context>
    <name></name>
    <message id="sdk.both">
        <source></source>
        <translation>both</translation>
    </message>
    <message id="sdk.component.only">
        <source></source>
        <translation>one moment</translation>
    </message>
    <message id="sdk.empty">
        <source></source>
        <translation></translation>
    </message>
</context>
</TS>
