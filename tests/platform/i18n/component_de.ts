<?xml version="1.0" encoding="utf-8"?>
<!-- SPDX-License-Identifier: Apache-2.0 -->
<!DOCTYPE TS>
<TS version="2.1" language="de">
<context>
    <name></name>
    <message id="sdk.component.only">
        <source></source>
        <translation>einen Moment für Sie</translation>
    </message>
</context>
</TS>
