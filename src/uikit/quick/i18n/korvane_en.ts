<?xml version="1.0" encoding="utf-8"?>
<!-- SPDX-License-Identifier: Apache-2.0 -->
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="en">
<context>
    <name></name>
    <!-- Everywhere -->
    <message id="sdk.onemomentplease">
        <source></source>
        <translation>One moment please</translation>
    </message>
    <message id="sdk.takinglonger">
        <source></source>
        <translation>This is taking longer than usual</translation>
    </message>
    <message id="errors.generic.api">
        <source></source>
        <translation>Something went wrong on our side. Please try again.</translation>
    </message>
    <message id="enrollment.enableFaceID.reason">
        <source></source>
        <translation>Confirm that it’s you, so you need fewer codes by text message.</translation>
    </message>
    <message id="sdk.biometrics.touch">
        <source></source>
        <translation>Touch the fingerprint reader.</translation>
    </message>
    <message id="sdk.biometrics.away">
        <source></source>
        <translation>Select this window to use the fingerprint reader.</translation>
    </message>
    <message id="sdk.biometrics.cancel">
        <source></source>
        <translation>Cancel</translation>
    </message>
    <message id="sdk.biometrics.nomatch">
        <source></source>
        <translation>That didn’t match. Please try again.</translation>
    </message>
    <message id="sdk.biometrics.retry">
        <source></source>
        <translation>We couldn’t read that. Please try again.</translation>
    </message>
    <!-- SMS -->
    <message id="sdk.sms.explain.header">
        <source></source>
        <translation>Let’s make sure it’s you</translation>
    </message>
    <message id="sdk.sms.explain.subheader">
        <source></source>
        <translation>To keep your card safe, we’ll send a 6-digit code to the mobile number we have for you.</translation>
    </message>
    <message id="sdk.sms.explain.button">
        <source></source>
        <translation>Send code</translation>
    </message>
    <message id="sdk.sms.code.header">
        <source></source>
        <translation>Enter your code</translation>
    </message>
    <message id="sdk.sms.code.subheader">
        <source></source>
        <translation>We’ve sent a 6-digit code to your mobile. It can take a minute.</translation>
    </message>
    <message id="sdk.sms.code.input">
        <source></source>
        <translation>Code from the text message</translation>
    </message>
    <message id="sdk.sms.code.expired">
        <source></source>
        <translation>That code has expired. Please ask for a new one.</translation>
    </message>
    <message id="sdk.sms.code.incorrect">
        <source></source>
        <translation>That code isn’t right. Check the latest message and try again.</translation>
    </message>
    <message id="sdk.sms.code.button">
        <source></source>
        <translation>Continue</translation>
    </message>
    <message id="sdk.sms.code.resend">
        <source></source>
        <translation>Send a new code</translation>
    </message>
    <message id="sdk.sms.code.resendIn">
        <source></source>
        <translation>Send a new code in %1 s</translation>
    </message>
    <message id="sdk.sms.code.resent">
        <source></source>
        <translation>A new code is on its way</translation>
    </message>
    <!-- PIN -->
    <message id="sdk.setpin.header">
        <source></source>
        <translation>Choose your PIN</translation>
    </message>
    <message id="sdk.setpin.fourdigits">
        <source></source>
        <translation>Use four digits</translation>
    </message>
    <message id="sdk.setpin.input">
        <source></source>
        <translation>New PIN</translation>
    </message>
    <message id="sdk.setpin.button">
        <source></source>
        <translation>Continue</translation>
    </message>
    <message id="sdk.setpin.fourdigits.info">
        <source></source>
        <translation>Your PIN is four digits long. You’ll use it to pay in shops and to take out cash. Choose one that only you know, and don’t share it with anyone. We’ll never ask you for it.</translation>
    </message>
    <message id="sdk.setpin.fourdigits.info.button">
        <source></source>
        <translation>Got it</translation>
    </message>
    <message id="sdk.youcandobetter.header">
        <source></source>
        <translation>Choose a stronger PIN</translation>
    </message>
    <message id="sdk.youcandobetter.subheader">
        <source></source>
        <translation>That PIN is easy to guess.</translation>
    </message>
    <message id="sdk.youcandobetter.bullet.one">
        <source></source>
        <translation>No runs, like 1234 or 4321</translation>
    </message>
    <message id="sdk.youcandobetter.bullet.two">
        <source></source>
        <translation>No repeats, like 1111 or 5990</translation>
    </message>
    <message id="sdk.youcandobetter.bullet.three">
        <source></source>
        <translation>Four digits only you would pick</translation>
    </message>
    <message id="sdk.youcandobetter.button">
        <source></source>
        <translation>Choose another PIN</translation>
    </message>
    <message id="sdk.confirmpin.header">
        <source></source>
        <translation>Enter your PIN again</translation>
    </message>
    <message id="sdk.confirmpin.input">
        <source></source>
        <translation>New PIN, again</translation>
    </message>
    <message id="sdk.confirmpin.button">
        <source></source>
        <translation>Set PIN</translation>
    </message>
    <message id="sdk.error.matchpin.message">
        <source></source>
        <translation>The PINs don’t match. Enter your new PIN again.</translation>
    </message>
    <message id="sdk.somethingdoesntmatch.header">
        <source></source>
        <translation>The PINs don’t match</translation>
    </message>
    <message id="sdk.somethingdoesntmatch.subheader">
        <source></source>
        <translation>Your PIN hasn’t been changed. Enter the same four digits both times.</translation>
    </message>
    <message id="sdk.somethingdoesntmatch.button">
        <source></source>
        <translation>Try again</translation>
    </message>
    <message id="sdk.success.setpin.header">
        <source></source>
        <translation>Your PIN is set</translation>
    </message>
    <message id="sdk.success.setpin.subheader">
        <source></source>
        <translation>You can use it straight away.</translation>
    </message>
    <message id="sdk.success.setpin.button">
        <source></source>
        <translation>Done</translation>
    </message>
    <!-- Activation -->
    <message id="sdk.success.cardActivatedAndSetPin.header">
        <source></source>
        <translation>Your card is ready</translation>
    </message>
    <message id="sdk.success.cardActivatedAndSetPin.subheader">
        <source></source>
        <translation>It’s active and your PIN is set. You can use both straight away.</translation>
    </message>
    <message id="sdk.success.cardActivatedAndSetPin.button">
        <source></source>
        <translation>Done</translation>
    </message>
    <message id="sdk.cardnotactivated.header">
        <source></source>
        <translation>Activate your card first</translation>
    </message>
    <message id="sdk.cardnotactivated.subheader">
        <source></source>
        <translation>You can set a PIN once your card is active. It takes about a minute, and you’ll need the card at hand.</translation>
    </message>
    <message id="sdk.cardnotactivated.button.one">
        <source></source>
        <translation>Activate card</translation>
    </message>
    <message id="sdk.cardnotactivated.button.two">
        <source></source>
        <translation>Not now</translation>
    </message>
    <message id="sdk.cardactivated.header">
        <source></source>
        <translation>Your card is already active</translation>
    </message>
    <message id="sdk.cardactivated.subheader">
        <source></source>
        <translation>There’s nothing more to do. If you like, you can set a new PIN.</translation>
    </message>
    <message id="sdk.cardactivated.button.one">
        <source></source>
        <translation>Close</translation>
    </message>
    <message id="sdk.cardactivated.button.two">
        <source></source>
        <translation>Set a new PIN</translation>
    </message>
    <message id="sdk.cardarrived.header">
        <source></source>
        <translation>Your card is here</translation>
    </message>
    <message id="sdk.cardarrived.subheader">
        <source></source>
        <translation>Activate it and choose a PIN to start using it.</translation>
    </message>
    <message id="sdk.cardarrived.start">
        <source></source>
        <translation>Activate card</translation>
    </message>
    <message id="sdk.activatecard.lastfourdigits.header">
        <source></source>
        <translation>Last four digits of your card number</translation>
    </message>
    <message id="sdk.activatecard.lastfourdigits.input">
        <source></source>
        <translation>Last four digits of the card number</translation>
    </message>
    <message id="sdk.activatecard.lastfourdigits.button">
        <source></source>
        <translation>Continue</translation>
    </message>
    <message id="sdk.activatecard.cvv.header">
        <source></source>
        <translation>Security code</translation>
    </message>
    <message id="sdk.activatecard.cvv.subheader">
        <source></source>
        <translation>The three digits on the back of your card.</translation>
    </message>
    <message id="sdk.activatecard.cvv.input">
        <source></source>
        <translation>Security code</translation>
    </message>
    <message id="sdk.activatecard.cvv.button">
        <source></source>
        <translation>Continue</translation>
    </message>
    <!-- Card viewer -->
    <message id="sdk.cardtype.physical">
        <source></source>
        <translation>Physical card</translation>
    </message>
    <message id="sdk.cardtype.virtual">
        <source></source>
        <translation>Virtual card</translation>
    </message>
    <message id="sdk.cardtype.wearable">
        <source></source>
        <translation>Wearable card</translation>
    </message>
    <message id="sdk.cardtype.paywallet">
        <source></source>
        <translation>Wallet card</translation>
    </message>
    <message id="sdk.cardtype.none">
        <source></source>
        <translation>Your card</translation>
    </message>
    <message id="sdk.cardviewer.activateAndSetPin.onCardButton">
        <source></source>
        <translation>Activate card</translation>
    </message>
    <message id="sdk.cardviewer.card.activateAndSetPin.onCardFrozenMessage.header">
        <source></source>
        <translation>Your card is frozen</translation>
    </message>
    <message id="sdk.cardviewer.activateAndSetPin.onCardFrozenMessage.subheader">
        <source></source>
        <translation>Unfreeze it to pay or take out cash.</translation>
    </message>
    <message id="sdk.cardviewer.device.details">
        <source></source>
        <translation>Card details</translation>
    </message>
    <message id="sdk.cardviewer.device.details.cardholderName">
        <source></source>
        <translation>Name on card</translation>
    </message>
    <message id="sdk.cardviewer.device.details.cardNumber">
        <source></source>
        <translation>Card number</translation>
    </message>
    <message id="sdk.cardviewer.device.details.expirationDate">
        <source></source>
        <translation>Expiry date</translation>
    </message>
    <message id="sdk.cardviewer.device.details.cvv">
        <source></source>
        <translation>Security code</translation>
    </message>
    <message id="sdk.cardviewer.device.details.reveal">
        <source></source>
        <translation>Show details</translation>
    </message>
    <message id="sdk.cardviewer.device.details.hide">
        <source></source>
        <translation>Hide details</translation>
    </message>
    <message id="sdk.cardviewer.device.details.missing">
        <source></source>
        <translation>Not available</translation>
    </message>
    <message id="sdk.taptocopy">
        <source></source>
        <translation>Tap to copy</translation>
    </message>
    <message id="sdk.copiedToClipboard">
        <source></source>
        <translation>Copied</translation>
    </message>
    <message id="sdk.cardviewer.card.activateAndSetPin.freezeMyCard">
        <source></source>
        <translation>Freeze my card</translation>
    </message>
    <message id="sdk.cardviewer.card.activateAndSetPin.freezeCardPopup.header">
        <source></source>
        <translation>Freeze your card?</translation>
    </message>
    <message id="sdk.cardviewer.card.activateAndSetPin.freezeCardPopup.body">
        <source></source>
        <translation>Payments and cash withdrawals will be declined until you unfreeze it.</translation>
    </message>
    <message id="sdk.cardviewer.card.activateAndSetPin.freezeCardPopup.freezeButton">
        <source></source>
        <translation>Freeze card</translation>
    </message>
    <message id="sdk.cardviewer.card.activateAndSetPin.freezeCardPopup.cancelButton">
        <source></source>
        <translation>Cancel</translation>
    </message>
    <message id="sdk.cardviewer.card.activateAndSetPin.unFreezeCardPopup.header">
        <source></source>
        <translation>Unfreeze your card?</translation>
    </message>
    <message id="sdk.cardviewer.card.activateAndSetPin.unFreezeCardPopup.body">
        <source></source>
        <translation>You’ll be able to pay and take out cash again.</translation>
    </message>
    <message id="sdk.cardviewer.card.activateAndSetPin.unFreezeCardPopup.unFreezeButton">
        <source></source>
        <translation>Unfreeze card</translation>
    </message>
    <message id="sdk.cardviewer.card.activateAndSetPin.unFreezeCardPopup.cancelButton">
        <source></source>
        <translation>Cancel</translation>
    </message>
    <message id="errors.base64todata.failed">
        <source></source>
        <translation>We can’t show your card’s picture right now.</translation>
    </message>
    <message id="errors.datatoimage.failed">
        <source></source>
        <translation>We can’t show your card’s picture right now.</translation>
    </message>
    <message id="errors.decodedimgstrempty.failed">
        <source></source>
        <translation>We can’t show your card’s picture right now.</translation>
    </message>
    <message id="errors.decodedDisclosureStructIsNil">
        <source></source>
        <translation>We can’t show the terms for your card right now.</translation>
    </message>
    <!-- Errors -->
    <message id="sdk.errorPage.tryagain.header">
        <source></source>
        <translation>We couldn’t finish this</translation>
    </message>
    <message id="sdk.errorPage.tryagain.subheader.one">
        <source></source>
        <translation>Something went wrong on our side.</translation>
    </message>
    <message id="sdk.errorPage.tryagain.subheader.two">
        <source></source>
        <translation>Please try again in a little while.</translation>
    </message>
    <message id="sdk.errorPage.tryagain.button">
        <source></source>
        <translation>Close</translation>
    </message>
    <message id="sdk.registration.errorPage.header">
        <source></source>
        <translation>That didn’t work</translation>
    </message>
    <message id="sdk.registration.errorPage.body">
        <source></source>
        <translation>We couldn’t complete this step. Please go back and try again.</translation>
    </message>
    <message id="sdk.registration.errorPage.button">
        <source></source>
        <translation>Go back</translation>
    </message>
    <message id="sdk.errorPage.contactSupport.header">
        <source></source>
        <translation>Please contact us</translation>
    </message>
    <message id="sdk.errorPage.contactSupport.subheader.one">
        <source></source>
        <translation>We can’t do this for you in the app.</translation>
    </message>
    <message id="sdk.errorPage.contactSupport.subheader.two">
        <source></source>
        <translation>Our support team is there to help.</translation>
    </message>
    <message id="sdk.errorPage.contactSupport.button.one">
        <source></source>
        <translation>Close</translation>
    </message>
    <!-- Accessibility -->
    <message id="sdk.accessibility.back">
        <source></source>
        <translation>Back</translation>
    </message>
    <message id="sdk.accessibility.close">
        <source></source>
        <translation>Close</translation>
    </message>
    <message id="sdk.accessibility.busy">
        <source></source>
        <translation>Please wait</translation>
    </message>
    <message id="sdk.accessibility.hidden">
        <source></source>
        <translation>Hidden</translation>
    </message>
    <message id="sdk.accessibility.shown">
        <source></source>
        <translation>Shown</translation>
    </message>
    <message id="sdk.accessibility.passcode">
        <source></source>
        <translation>%1, %2 of %3 digits entered</translation>
    </message>
</context>
</TS>
